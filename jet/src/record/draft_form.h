// The bytes that are stored for a long value whose pieces wait in a draft.
#pragma once

#include <memory>

#include "jet/schema.h"
#include "page/pager.h"
#include "record/long_value.h"
#include "record/value_draft.h"

namespace jet {

// The same as EncodeText makes of a text that is too long to be compressed. The draft must outlive
// it. Errors: those of the draft.
std::unique_ptr<LongValueBytes> StoredForm(Pager& pager, const ValueDraft& draft);

}  // namespace jet
