#pragma once

#include <functional>
#include <string>

// Fallible calls of this program and of the libraries in it, made to fail by number. Memory: malloc and its
// kin (under the address sanitizer, operator new). Files: fopen, fwrite, fclose, mkdir, stat.
enum class Calls { Memory, Files };

// Runs what it is given with the fault in force. False when std::bad_alloc came out.
using Armed = std::function<bool(const std::function<void()>&)>;

// Runs `round` with the first call of that kind failing, with the second, and so on to the end; then with all
// calls from the first on failing, from the second on, and so on. Each round has to leave as many blocks
// allocated and as many descriptors open as there were. Returns how many points it has passed.
unsigned long Sweep(Calls calls, int error, const std::function<void(const Armed&)>& round);

// The blocks that malloc and the like have given out and nobody has freed.
long LiveBlocks();

// From now on libjpeg finds that it is of another version than its caller, or works again.
void SetForeignJPEG(bool foreign);
