#include "support/Golden.h"

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace sonavex {
namespace {

std::vector<std::string> Cells(const std::string& line) {
    std::vector<std::string> cells;
    std::istringstream stream(line);
    for (std::string cell; std::getline(stream, cell, ',');) cells.push_back(cell);
    return cells;
}

Golden::Row ToRow(const std::vector<std::string>& names, const std::string& line) {
    const std::vector<std::string> cells = Cells(line);
    if (cells.size() != names.size()) throw std::runtime_error("wrong number of cells: " + line);
    Golden::Row row;
    for (std::size_t i = 0; i < names.size(); ++i) row[names[i]] = std::stod(cells[i]);
    return row;
}

}  // namespace

Golden ReadGolden(const std::string& name) {
    std::ifstream file(std::string(SONAVEX_GOLDEN_DIRECTORY) + "/" + name + ".csv");
    std::string line;
    if (!std::getline(file, line)) throw std::runtime_error("no golden file " + name);
    const std::vector<std::string> names = Cells(line);
    if (!std::getline(file, line)) throw std::runtime_error("no tolerances in " + name);
    Golden golden;
    golden.tolerance = ToRow(names, line);
    while (std::getline(file, line)) golden.rows.push_back(ToRow(names, line));
    if (golden.rows.empty()) throw std::runtime_error("no results in " + name);
    return golden;
}

}  // namespace sonavex
