#pragma once

#include <functional>
#include <string>

// Calls of this program and its libraries that can be made to fail. Memory: malloc and the like (under the address
// sanitizer only operator new). Files: fopen, fwrite, fclose, mkdir, stat.
enum class Calls { Memory, Files };

// Runs a function while the fault is active. Returns false when std::bad_alloc came out.
using Armed = std::function<bool(const std::function<void()>&)>;

// Runs `round` again and again. In the first series one call of that kind fails: the first call, then the second, and
// so on to the last. In the second series that call and all after it fail. After each round there have to be as many
// allocated blocks and open descriptors as before. Returns how many calls were made to fail.
unsigned long Sweep(Calls calls, int error, const std::function<void(const Armed&)>& round);

// The blocks that malloc and the like have given out and nobody has freed.
long LiveBlocks();

// With `foreign`, libjpeg finds from now on that its caller wants another version; without, it works again.
void SetForeignJPEG(bool foreign);
