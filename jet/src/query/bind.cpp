#include "query/bind.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "jet/error.h"

namespace jet {

Query Bind(const Query& query, std::span<const Value> parameters) {
    std::size_t places = 0;
    for (const Condition& condition : query.conditions) {
        if (condition.parameter < 0) continue;
        places = std::max(places, static_cast<std::size_t>(condition.parameter) + 1);
    }
    if (places != parameters.size()) {
        throw Error(ErrorKind::kSyntax, "The number of values that the query takes is " +
                                            std::to_string(places) + ", not " +
                                            std::to_string(parameters.size()) + ".");
    }
    Query bound = query;
    for (Condition& condition : bound.conditions) {
        if (condition.parameter < 0) continue;
        condition.literal = parameters[static_cast<std::size_t>(condition.parameter)];
        condition.parameter = -1;
    }
    return bound;
}

}  // namespace jet
