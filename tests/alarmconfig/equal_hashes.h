#ifndef TESTS_ALARMCONFIG_EQUAL_HASHES_H_
#define TESTS_ALARMCONFIG_EQUAL_HASHES_H_

/// While it exists, new tables and text pools get a hash key with which all texts have the same hash:
/// the linker redirects `getrandom` (--wrap).
class EqualHashes {
 public:
  EqualHashes();
  ~EqualHashes();
  EqualHashes(const EqualHashes&) = delete;
  EqualHashes& operator=(const EqualHashes&) = delete;
};

#endif  // TESTS_ALARMCONFIG_EQUAL_HASHES_H_
