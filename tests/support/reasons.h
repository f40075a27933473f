// Why tests are left out where what they need is absent.
#pragma once

namespace tarn_test {

inline constexpr const char* kNoCorpus =
    "The files of other origin do not lie in ../shared/corpus beside this source tree.";
inline constexpr const char* kNoPlanting =
    "The program that plants damages does not lie in ../shared/tools beside this source tree.";

}  // namespace tarn_test
