// What a command says: results to the standard output, all else to the other one.
#pragma once

#include <string>
#include <string_view>

namespace fcdtool {

// A line of the result. Throws std::runtime_error when it cannot be written.
void Say(std::string_view line);
// A line about what went wrong or on.
void Report(std::string_view line);
// Whatever waits is written now; throws std::runtime_error when it cannot be.
void FinishOutput();

// Shows how far long work has come, where people see it: on a terminal, and not before it takes
// noticeably long.
class Progress {
public:
    Progress(std::size_t total, std::string_view what);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();  // takes the line away
    void Step(std::size_t rows);
    // Takes the line away until the next step, so that another one can be written.
    void Hide();

private:
    void Show();
    [[nodiscard]] double Seconds() const;

    std::size_t total_;
    std::string what_;
    std::size_t done_ = 0;
    std::size_t rows_ = 0;
    double begun_ = 0;
    double shown_ = 0;
    bool isVisible_;
};

}  // namespace fcdtool
