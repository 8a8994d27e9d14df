#pragma once

namespace standin {

// The kinds of objects that a host makes for its driver. A test can make each of them fail.
enum class Factory : unsigned { Node, Document, CommandMessage, Clone, BindMessage };

}  // namespace standin
