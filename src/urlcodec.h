#ifndef SRC_URLCODEC_H_
#define SRC_URLCODEC_H_

/// The unit that holds the four coding functions of `ascii_util/text_functions.h`: the percent encoder, its
/// decoder, the percent escaper and the conversion to ISO-8859-1. It keeps nothing of its own.
#include "ascii_util/text_functions.h"

#endif  // SRC_URLCODEC_H_
