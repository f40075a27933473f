// The one error above the engine: a customary number, a sentence for the user, and, where somebody
// on its way up knows, what it was about ("North, location 2").
#pragma once

#include <QString>

#include <stdexcept>

namespace platform {

// Numbers used by the program's own code; the engine's errors bring theirs along.
enum ErrorNumber {
    kInvalidArgument = 5,
    kOverflow = 6,
    kOutOfMemory = 7,
    kSubscriptOutOfRange = 9,
    kTypeMismatch = 13,
    kFileNotFound = 53,
    kDeviceError = 57,
    kDiskFull = 61,
    kPermissionDenied = 70,
    kPathAccess = 75,
    kPathNotFound = 76,
    kObjectNotSet = 91,
    kNoCurrentRecord = 3021,
    kDuplicateKey = 3022,
    kNoSuchFile = 3024,
    kFileSystemFull = 3026,
    kNoTransaction = 3034,
    kDamagedFile = 3049,
    kReadOnlyFile = 3051,
    kObjectClosed = 3420,
};

class RuntimeError : public std::runtime_error {
public:
    RuntimeError(int number, const QString& description)
        : std::runtime_error(description.toStdString()),
          number_(number),
          description_(description) {}

    [[nodiscard]] int Number() const { return number_; }
    [[nodiscard]] const QString& Description() const { return description_; }
    [[nodiscard]] const QString& Subject() const { return subject_; }
    // Says what the error is about. Who is nearest to it has said it first, and best.
    void Concern(const QString& subject) {
        if (subject_.isEmpty()) {
            subject_ = subject;
        }
    }

private:
    int number_;
    QString description_;
    QString subject_;
};

// Runs `body`; an error that ends it is about what `subject()` names, which is asked only then.
template <typename Subject, typename Body>
auto Concerning(Subject subject, Body body) {
    try {
        return body();
    } catch (RuntimeError& error) {
        error.Concern(subject());
        throw;
    }
}

}  // namespace platform
