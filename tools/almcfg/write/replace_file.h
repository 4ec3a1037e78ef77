#ifndef TOOLS_ALMCFG_WRITE_REPLACE_FILE_H_
#define TOOLS_ALMCFG_WRITE_REPLACE_FILE_H_

#include <string>

/// Replaces a file in one step, for `almcfg fix --in-place`. Keeps no file open. Threads: one at a time.
namespace almcfg {

/// Replaces the regular file `path` by one with this content, the same mode, owner and group, but without its
/// extended attributes. Other processes see the old file or the new one, never a part. With `backup` the old file
/// stays as PATH.bak, which must not exist. Throws `std::runtime_error` with the reason and leaves the file
/// unchanged: when a step fails (PATH.bak may then exist), or when the path is not a regular file, is a symbolic
/// link, has other hard links, which would keep the old content, or has an access control list.
void ReplaceFile(const std::string& path, const std::string& content, bool backup);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_WRITE_REPLACE_FILE_H_
