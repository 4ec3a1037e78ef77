#ifndef SRC_TEXT_C_STRTOL_H_
#define SRC_TEXT_C_STRTOL_H_

/// The C library's `strtol`, bound by its symbol. Required: the only prefixes are "0x" and a leading zero.
/// The headers of newer C libraries redirect the name `strtol`, and its whole family, to functions that also
/// accept "0b".
///
/// Sets `*end`, unless `end` is null, to the first character that was not read; for a base other than 0 and 2
/// to 36 it leaves `*end` unchanged. Any thread may call it.
extern "C" long c_strtol(const char* text, char** end, int base) noexcept __asm__("strtol");

#endif  // SRC_TEXT_C_STRTOL_H_
