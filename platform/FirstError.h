// Takes several steps although one of them fails: the others are not lost for it.
#pragma once

#include <exception>

namespace platform {

class FirstError {
public:
    // Runs a step; the first error of all steps is kept.
    template <typename Step>
    void Try(Step step) {
        try {
            step();
        } catch (...) {
            error_ = error_ ? error_ : std::current_exception();
        }
    }
    // Throws the error that was kept, if any.
    void Rethrow() const {
        if (error_) {
            std::rethrow_exception(error_);
        }
    }

private:
    std::exception_ptr error_;
};

}  // namespace platform
