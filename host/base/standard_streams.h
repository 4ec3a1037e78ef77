#ifndef HOST_BASE_STANDARD_STREAMS_H_
#define HOST_BASE_STANDARD_STREAMS_H_

namespace host {

/// Opens those of the descriptors 0 to 2 that are closed at the start of the process, so that no file opened
/// later becomes its standard input, output or error. Reading and writing these descriptors still fails.
/// To be called once, from `main`, before any file is opened and any thread started.
void HoldStandardStreams();

}  // namespace host

#endif  // HOST_BASE_STANDARD_STREAMS_H_
