#ifndef HOST_STANDARD_STREAMS_H_
#define HOST_STANDARD_STREAMS_H_

namespace host {

/// Occupies those of the descriptors 0 to 2 that the process was started without, so that no file which is
/// opened later becomes its standard input or output. Reading and writing them fails as if they were closed.
/// To be called before anything is opened.
void HoldStandardStreams();

}  // namespace host

#endif  // HOST_STANDARD_STREAMS_H_
