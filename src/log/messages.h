#ifndef SRC_LOG_MESSAGES_H_
#define SRC_LOG_MESSAGES_H_

/// Every message that the bundle sends to the log service or to ACE's log, except the assertion of the
/// exterminator (src/service/asciiutilsvc.cpp).
///
/// Required: tag, number, level and text never change, spelling mistakes included; log watchers search for
/// them. The numbers are not line numbers of the present sources. docs/binary-contract.md lists the same
/// messages, and a test compares the two.
namespace NS_ASCII::messages {

/// A plain value; all texts are NUL-terminated.
struct Message {
  const char* tag;   ///< sent as the file
  int number;        ///< sent as the line
  int level;         ///< 0 details, 1 decisions and errors, 2 the start of the service and its failure
  const char* text;  ///< sent as the message, or as the format where a message takes a value
};

inline constexpr Message kNoConfigDirectory{"asciiutilsvc", 25, 2, "Get environment variable kelp failed !!"};
inline constexpr Message kInitSucceeded{"asciiutilsvc", 32, 2, "run successfull!! "};

// The format's conversion is written backwards, so its value is never shown.
inline constexpr Message kWrongFieldCount{"almconfig", 148, 1, "almconfig.cfg file error. line=s%"};
inline constexpr Message kEmptyField{"almconfig", 195, 1, "almconfig.cfg file error. line=s%"};
inline constexpr Message kTooManyFields{"almconfig", 203, 1, "almconfig.cfg file error. line=s%"};

inline constexpr Message kItemUnreadable{"asciiutilifimpl", 49, 0, "read conf item IsTransQuelt failed."};
inline constexpr Message kTranslationOff{"asciiutilifimpl", 53, 1, "acces QueltTools "};
inline constexpr Message kTranslationOn{"asciiutilifimpl", 57, 1, "Trans QueltTools "};
inline constexpr Message kStampTooLong{"asciiutilifimpl", 86, 1, "sprintf_s failed."};

// To ACE's log at error priority, through the format "%p\n"; the level is not used.
inline constexpr Message kSlotNotSet{"logmgr", 90, 0, "Error: ACE_Thread::setspecific() failed!"};

}  // namespace NS_ASCII::messages

#endif  // SRC_LOG_MESSAGES_H_
