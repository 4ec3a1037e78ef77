#ifndef FRAMEWORK_VISIBILITY_H_
#define FRAMEWORK_VISIBILITY_H_

/// Marks a type or function that crosses library borders.
///
/// The libraries of this project are compiled with hidden visibility. A type that one library creates
/// and another one casts, or throws and catches, needs one identity in the whole process; a function
/// that a provider of the platform supplies must be found by the bundle's dynamic linker. Both carry
/// this mark. (A macro, because an attribute cannot be spelled any other way.)
#define PLATFORM_API __attribute__((visibility("default")))

#endif  // FRAMEWORK_VISIBILITY_H_
