#include "os/posix_errors.h"

#include <cerrno>
#include <string>

namespace jet {

Error ErrorOfNaming(int code, const std::filesystem::path& path) {
    const std::string name = '"' + path.filename().string() + '"';
    switch (code) {
        case ENOENT:
        case ENOTDIR:
        case ENAMETOOLONG:
        case ELOOP:
            return Error(ErrorKind::kFileNotFound, "The file " + name + " cannot be found.");
        case EEXIST:
            return Error(ErrorKind::kAlreadyExists, "The file " + name + " exists already.");
        case EROFS:
            return Error(ErrorKind::kReadOnly, "The medium of " + name + " is read-only.");
        case EACCES:
        case EPERM:
            return Error(ErrorKind::kPermissionDenied, "Access to " + name + " is denied.");
        case EISDIR:
            return Error(ErrorKind::kPermissionDenied, name + " is a folder, not a file.");
        case ETXTBSY:
            return Error(ErrorKind::kFileInUse, "The file is in use by another program.");
        case ENOSPC:
        case EDQUOT:
            return Error(ErrorKind::kDiskFull, "There is no room left on the disk.");
        default:
            return Error(ErrorKind::kIo, "The file " + name + " cannot be opened.");
    }
}

Error ErrorOfTransfer(int code, const char* done) {
    switch (code) {
        case ENOSPC:
        case EDQUOT:
            return Error(ErrorKind::kDiskFull, "There is no room left on the disk.");
        case EFBIG:
            return Error(ErrorKind::kFileTooLarge,
                         "The file has reached the largest size allowed.");
        case EROFS:
            return Error(ErrorKind::kReadOnly, "The disk has become read-only.");
        default:
            return Error(ErrorKind::kIo, std::string("The file could not be ") + done +
                                             " (system error " + std::to_string(code) + ").");
    }
}

}  // namespace jet
