#include "page/bytes.h"

#include "jet/error.h"

namespace jet {

void ThrowOutOfBounds() {
    throw Error(ErrorKind::kDamaged, "The file is damaged: an offset points outside its page.");
}

void ThrowDamaged(const char* sentence) {
    throw Error(ErrorKind::kDamaged, sentence);
}

}  // namespace jet
