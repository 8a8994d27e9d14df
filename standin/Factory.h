#pragma once

namespace standin {

// What a host makes for its driver; a test may let it make none.
enum class Factory : unsigned { Node, Document, CommandMessage, Clone, BindMessage };

}  // namespace standin
