#pragma once

#include "driverhost/io/FileContent.h"

#include <string>
#include <string_view>

namespace driverhost {

// Opens the regular file to which the path leads below `root`; null for anything else, and for what
// links show of other places.
FilePtr OpenPicture(const std::string& root, std::string_view path);

// The content type of a picture, by the name's ending. Whatever has another is no picture, and no
// browser shows it.
std::string PictureType(std::string_view path);

}  // namespace driverhost
