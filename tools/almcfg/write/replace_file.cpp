// Writes a temporary file and renames it over the original one. No file stays open. One thread at a time.

#include "tools/almcfg/write/replace_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace almcfg {
namespace {

[[noreturn]] void ThrowErrno(const std::string& what) {
  throw std::runtime_error(what + ": " + std::generic_category().message(errno));
}

/// A new file beside the one to replace. Removes it unless it was renamed.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& path)
      : path_(path.substr(0, path.rfind('/') + 1) + ".almcfg-XXXXXX"), fd_(mkstemp(path_.data())) {
    if (fd_ < 0) {
      ThrowErrno("its folder cannot be written");
    }
  }
  ~TemporaryFile() {
    close(fd_);
    if (!isRenamed_) {
      unlink(path_.c_str());
    }
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  void Write(const std::string& content) {
    for (std::size_t written = 0; written < content.size();) {
      const ssize_t count = write(fd_, content.data() + written, content.size() - written);
      if (count < 0 && errno != EINTR) {
        ThrowErrno("the new file cannot be written");
      }
      written += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
  }

  /// The owner first: changing it clears some permissions.
  void CopyOwnerAndMode(const struct stat& status) {
    struct stat own;
    const bool isSame = fstat(fd_, &own) == 0 && own.st_uid == status.st_uid && own.st_gid == status.st_gid;
    if (!isSame && fchown(fd_, status.st_uid, status.st_gid) != 0) {
      ThrowErrno("its owner cannot be kept");
    }
    if (fchmod(fd_, status.st_mode & 07777U) != 0 || fsync(fd_) != 0) {
      ThrowErrno("the new file cannot be written");
    }
  }

  void RenameTo(const std::string& path) {
    if (rename(path_.c_str(), path.c_str()) != 0) {
      ThrowErrno("it cannot be replaced");
    }
    isRenamed_ = true;
  }

 private:
  std::string path_;
  int fd_;
  bool isRenamed_ = false;
};

struct stat StatusOfReplaceable(const std::string& path) {
  struct stat status;
  if (lstat(path.c_str(), &status) != 0) {
    ThrowErrno("it cannot be replaced");
  }
  if (S_ISLNK(status.st_mode)) {
    throw std::runtime_error("it is a symbolic link; name the file that it leads to");
  }
  if (!S_ISREG(status.st_mode)) {
    throw std::runtime_error("it is not a regular file; write the repaired file to standard output");
  }
  if (status.st_nlink > 1) {
    throw std::runtime_error("it has another hard link, which would keep the old content; remove the link");
  }
  // In the mode of such a file the group's bits are the ACL's mask. Copying the mode would give the group all
  // permissions of the mask.
  if (getxattr(path.c_str(), "system.posix_acl_access", nullptr, 0) > 0) {
    throw std::runtime_error("it has an access control list, which would be lost; write to standard output");
  }
  return status;
}

}  // namespace

void ReplaceFile(const std::string& path, const std::string& content, bool backup) {
  const struct stat status = StatusOfReplaceable(path);
  TemporaryFile file(path);
  file.Write(content);
  file.CopyOwnerAndMode(status);
  if (backup && link(path.c_str(), (path + ".bak").c_str()) != 0) {
    ThrowErrno("its backup " + path + ".bak cannot be made");
  }
  file.RenameTo(path);
}

}  // namespace almcfg
