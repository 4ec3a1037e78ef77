#ifndef FRAMEWORK_VISIBILITY_H_
#define FRAMEWORK_VISIBILITY_H_

/// Marks a type or function that crosses library boundaries.
///
/// The libraries of this project are compiled with hidden visibility. Types that one library creates and
/// another casts or catches have default visibility, and so have functions that the dynamic linker resolves
/// between libraries. A version script may still hide the types' type information, as that of
/// libii_ascii_util.so does; docs/decisions.md says why casts work without it. It is a macro because C++ has
/// no other way to give an attribute a name.
#define PLATFORM_API __attribute__((visibility("default")))

#endif  // FRAMEWORK_VISIBILITY_H_
