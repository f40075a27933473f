// The differences of two seasons as a document: every table of the newer one, changed cells marked.
#pragma once

#include "review/document.h"
#include "review/pairs.h"

namespace review {

Document DifferencePage(const season::Season& older, const season::Season& newer,
                        double tolerance = kUsualTolerance);

}  // namespace review
