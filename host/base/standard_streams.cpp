#include "host/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

void host::HoldStandardStreams() {
  // In this order, as each opening takes the lowest number that is free.
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (fcntl(stream, F_GETFD) < 0) {
      // Opened for the wrong direction, so that it cannot be used.
      static_cast<void>(open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
  }
}
