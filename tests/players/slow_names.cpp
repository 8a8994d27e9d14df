// Loaded before the C library: a name server that does not answer.
#include <netdb.h>

#include <unistd.h>

extern "C" int getaddrinfo(const char*, const char*, const addrinfo*, addrinfo**) {
  for (;;) pause();
}
