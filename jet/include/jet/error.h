// The one exception that the engine throws across its face.
//
// Everything that can go wrong with a file, a name or a value becomes a jet::Error: a kind for
// programs to decide by, the customary engine error number for logs, and a sentence that a user
// could read. A malformed file is an Error too; it never ends in an assertion.
#pragma once

#include <stdexcept>
#include <string>

namespace jet {

enum class ErrorKind {
    kFileNotFound,        // 3024 the file or its folder does not exist
    kFileInUse,           // 3045 another program or window holds the file
    kNotADatabase,        // 3343 no Jet signature, or cut off inside the header
    kUnsupportedVersion,  // 3343 a newer format than Jet 4
    kEncrypted,           // 3031 enciphered pages or a database password
    kDamaged,             // 3049 contents contradict the format
    kReadOnly,            // 3051 the file, its medium or this opening allows no writing
    kPermissionDenied,    // 70   the operating system refuses
    kDiskFull,            // 3026
    kIo,                  // 57   any other failure of a read, write or flush
    kFileTooLarge,        // 3183 the format's size limit is reached
    kNoCurrentRecord,     // 3021
    kDuplicateKey,        // 3022 a unique index holds the key already
    kNoEditBegun,         // 3020 Update without AddNew or Edit
    kNullNotAllowed,      // 3058 null in a required field or index column
    kNoSuchTable,         // 3078
    kNoSuchIndex,         // 3015
    kNoSuchField,         // 3265
    kAlreadyExists,       // 3010 a table, column or index of that name exists
    kBadName,             // 3125 a name that the format does not allow
    kSyntax,              // 3075 the query text cannot be understood
    kTypeMismatch,        // 13   a value that the field's type cannot hold
    kOverflow,            // 6    a number outside the field's range
    kTextTooLong,         // 3163 more characters than the field takes
    kRecordTooLarge,      // 3047
    kUnsupported,  // 3251 the engine cannot keep this table or index right, so it does not write
    kClosed,       // 3420 the database was closed under this object
    kOutOfMemory,  // 7
    kTransactionOpen,       // 3246 a transaction is open, in which this cannot be done
    kNoTransaction,         // 3034 the transaction has ended already
    kZeroLengthNotAllowed,  // 3315 an empty text in a field that takes none
    kRuleViolated,          // 3317 a value that the field's or the table's rule does not allow
    kRelatedRecords,        // 3200 records of another table refer to this one
    kNoRelatedRecord,       // 3201 the record that this one refers to does not exist
};

// The customary number of a kind, as listed above.
int ErrorNumber(ErrorKind kind);

class Error : public std::runtime_error {
public:
    Error(ErrorKind kind, const std::string& sentence)
        : std::runtime_error(sentence), kind_(kind) {}

    [[nodiscard]] ErrorKind Kind() const { return kind_; }
    [[nodiscard]] int Number() const { return ErrorNumber(kind_); }

private:
    ErrorKind kind_;
};

}  // namespace jet
