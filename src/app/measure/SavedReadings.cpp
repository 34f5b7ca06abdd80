#include "app/measure/SavedReadings.h"

#include <fstream>
#include <nlohmann/json.hpp>

#include "app/measure/MeasureError.h"

namespace sonavex::measure {
namespace {

std::optional<double> NumberIn(const nlohmann::json& object, const char* name) {
    const auto found = object.find(name);
    if (found == object.end() || !found->is_number()) return std::nullopt;
    return found->get<double>();
}

}  // namespace

SavedReading ReadSavedReading(const std::string& path) {
    std::ifstream file(path);
    if (!file) throw MeasureError("The reading '" + path + "' cannot be read.");
    const auto object = nlohmann::json::parse(file, nullptr, false);
    if (!object.is_object() || !object.contains("valid") || !object.contains("noise_dbfs"))
        throw MeasureError("The file '" + path + "' contains no saved reading.");
    if (object["valid"] != true) throw MeasureError("The reading '" + path + "' is void.");
    return {NumberIn(object, "thd_db"), NumberIn(object, "thdn_db"), NumberIn(object, "noise_dbfs")};
}

}  // namespace sonavex::measure
