#include "standin/Lock.h"

namespace standin {

std::recursive_mutex Lock::s_Mutex;

}  // namespace standin
