#ifndef SRC_TEXT_URLCODEC_H_
#define SRC_TEXT_URLCODEC_H_

/// The header of urlcodec.cpp, which implements four functions of `ascii_util/text_functions.h`:
/// `GetURLEncoding`, `GetURLDecoding`, `SetURLDecoding` and `utf8toiso8859`.
#include "ascii_util/text_functions.h"

#endif  // SRC_TEXT_URLCODEC_H_
