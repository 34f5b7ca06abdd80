#pragma once

#include <map>
#include <string>
#include <vector>

namespace sonavex {

// A file of recorded results: names of the columns, then how far each may be off, then the results.
struct Golden {
    using Row = std::map<std::string, double>;

    Row tolerance;
    std::vector<Row> rows;
};

// Reads tests/golden/<name>.csv; throws std::runtime_error when it is missing or not well formed.
Golden ReadGolden(const std::string& name);

}  // namespace sonavex
