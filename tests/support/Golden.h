#pragma once

#include <map>
#include <string>
#include <vector>

namespace sonavex {

// A file of recorded results: column names, then tolerances, then the results.
struct Golden {
    using Row = std::map<std::string, double>;

    Row tolerance;
    std::vector<Row> rows;
};

// Reads tests/golden/<name>.csv; throws std::runtime_error if it is missing or malformed.
Golden ReadGolden(const std::string& name);

}  // namespace sonavex
