#include "jet/error.h"

#include "os/out_of_memory.h"

namespace jet {

// Two lines for each kind, so that the compiler says which one lacks its number.
int ErrorNumber(ErrorKind kind) {
    switch (kind) {
        case ErrorKind::kFileNotFound:
            return 3024;
        case ErrorKind::kFileInUse:
            return 3045;
        case ErrorKind::kNotADatabase:
        case ErrorKind::kUnsupportedVersion:
            return 3343;
        case ErrorKind::kEncrypted:
            return 3031;
        case ErrorKind::kDamaged:
            return 3049;
        case ErrorKind::kReadOnly:
            return 3051;
        case ErrorKind::kPermissionDenied:
            return 70;
        case ErrorKind::kDiskFull:
            return 3026;
        case ErrorKind::kIo:
            return 57;
        case ErrorKind::kFileTooLarge:
            return 3183;
        case ErrorKind::kNoCurrentRecord:
            return 3021;
        case ErrorKind::kDuplicateKey:
            return 3022;
        case ErrorKind::kNoEditBegun:
            return 3020;
        case ErrorKind::kNullNotAllowed:
            return 3058;
        case ErrorKind::kNoSuchTable:
            return 3078;
        case ErrorKind::kNoSuchIndex:
            return 3015;
        case ErrorKind::kNoSuchField:
            return 3265;
        case ErrorKind::kAlreadyExists:
            return 3010;
        case ErrorKind::kBadName:
            return 3125;
        case ErrorKind::kSyntax:
            return 3075;
        case ErrorKind::kTypeMismatch:
            return 13;
        case ErrorKind::kOverflow:
            return 6;
        case ErrorKind::kTextTooLong:
            return 3163;
        case ErrorKind::kRecordTooLarge:
            return 3047;
        case ErrorKind::kUnsupported:
            return 3251;
        case ErrorKind::kClosed:
            return 3420;
        case ErrorKind::kOutOfMemory:
            return 7;
        case ErrorKind::kTransactionOpen:
            return 3246;
        case ErrorKind::kNoTransaction:
            return 3034;
        case ErrorKind::kZeroLengthNotAllowed:
            return 3315;
        case ErrorKind::kRuleViolated:
            return 3317;
        case ErrorKind::kRelatedRecords:
            return 3200;
        case ErrorKind::kNoRelatedRecord:
            return 3201;
    }
    return 0;  // unreachable: every kind is listed
}

namespace {

// Made before memory can run out; a copy shares the sentence.
const Error outOfMemory(ErrorKind::kOutOfMemory, "There is not enough memory.");

}  // namespace

void ThrowOutOfMemory() {
    throw Error(outOfMemory);
}

}  // namespace jet
