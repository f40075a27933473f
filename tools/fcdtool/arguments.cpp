#include "tools/fcdtool/arguments.h"

#include <algorithm>

namespace fcdtool {

namespace {

const Option& Known(const std::vector<Option>& known, std::string_view name) {
    const auto found = std::find_if(known.begin(), known.end(),
                                    [name](const Option& option) { return option.name == name; });
    if (found == known.end()) {
        throw UsageError("There is no option " + std::string(name) + " here.");
    }
    return *found;
}

}  // namespace

Arguments::Arguments(const std::vector<std::string>& words, const std::vector<Option>& known) {
    bool optionsEnded = false;
    for (std::size_t at = 0; at < words.size(); ++at) {
        const std::string& word = words[at];
        if (optionsEnded || word.size() < 2 || word[0] != '-') {
            rest_.push_back(word);
            continue;
        }
        if (word == "--") {
            optionsEnded = true;
            continue;
        }
        const std::size_t equals = word.find('=');
        const Option& option = Known(known, word.substr(0, equals));
        if (equals != std::string::npos && !option.takesValue) {
            throw UsageError(std::string(option.name) + " takes no value.");
        }
        if (option.takesValue && equals == std::string::npos && ++at == words.size()) {
            throw UsageError(std::string(option.name) + " lacks its value.");
        }
        Take(option, equals != std::string::npos ? word.substr(equals + 1)
                     : option.takesValue         ? words[at]
                                                 : std::string());
    }
}

void Arguments::Take(const Option& option, const std::string& value) {
    auto& values = values_[std::string(option.name)];
    if (!values.empty() && !option.repeats) {
        throw UsageError(std::string(option.name) + " is given twice.");
    }
    values.push_back(value);
}

bool Arguments::Has(std::string_view option) const {
    return values_.find(option) != values_.end();
}

std::string Arguments::Value(std::string_view option) const {
    const auto found = values_.find(option);
    return found == values_.end() ? std::string() : found->second.front();
}

std::vector<std::string> Arguments::Values(std::string_view option) const {
    const auto found = values_.find(option);
    return found == values_.end() ? std::vector<std::string>() : found->second;
}

std::string Arguments::Required(std::string_view option) const {
    if (Value(option).empty()) {
        throw UsageError(std::string(option) + " must be given.");
    }
    return Value(option);
}

const std::vector<std::string>& Arguments::Exactly(std::size_t count, std::string_view what) const {
    if (rest_.size() != count) {
        throw UsageError("This command takes " + std::string(what) + ".");
    }
    return rest_;
}

}  // namespace fcdtool
