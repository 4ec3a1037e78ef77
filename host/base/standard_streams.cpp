// Opens /dev/null for standard descriptors that are closed; they stay open until the process ends. Called
// once, by `main`.

#include "host/base/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

void host::HoldStandardStreams() {
  // In ascending order: `open` returns the lowest free descriptor.
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (fcntl(stream, F_GETFD) < 0) {
      // The opposite direction makes every read or write of the descriptor fail.
      static_cast<void>(open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
  }
}
