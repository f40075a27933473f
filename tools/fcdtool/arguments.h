// The words of a command line as options and the rest.
#pragma once

#include <initializer_list>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace fcdtool {

// A command line that means nothing; the sentence says why.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// An option that a command knows.
struct Option {
    std::string_view name;  // with its dashes
    bool takesValue = false;
    bool repeats = false;
};

class Arguments {
public:
    // Options stand anywhere, their values behind them or behind "=", up to "--". Throws UsageError
    // for what is not known, given twice or lacks its value.
    Arguments(const std::vector<std::string>& words, const std::vector<Option>& known);

    [[nodiscard]] bool Has(std::string_view option) const;
    // The value, or an empty text.
    [[nodiscard]] std::string Value(std::string_view option) const;
    [[nodiscard]] std::vector<std::string> Values(std::string_view option) const;
    // The same where one must be given.
    [[nodiscard]] std::string Required(std::string_view option) const;
    [[nodiscard]] const std::vector<std::string>& Rest() const { return rest_; }
    // The rest, which must be that many words.
    [[nodiscard]] const std::vector<std::string>& Exactly(std::size_t count,
                                                          std::string_view what) const;

private:
    void Take(const Option& option, const std::string& value);

    std::map<std::string, std::vector<std::string>, std::less<>> values_;
    std::vector<std::string> rest_;
};

}  // namespace fcdtool
