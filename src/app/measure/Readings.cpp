#include "app/measure/Readings.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "app/measure/MeasureError.h"
#include "platform/plain/LocalTime.h"

namespace sonavex::measure {
namespace {

constexpr int kColumn = 9;
constexpr const char* kProduct = "Quenby Software Audio Sonavex";

std::int64_t Whole(float value) {
    return std::llround(static_cast<double>(value));
}

template <class Labels>
nlohmann::ordered_json Captions(const Labels& labels) {
    auto list = nlohmann::ordered_json::array();
    for (const Label& label : labels) list.push_back(label.Caption());
    return list;
}

void Cell(std::ostream& out, const std::string& text) {
    out << std::setw(kColumn) << text;
}

void DetailLines(std::ostream& out, const StreamDetails& details) {
    out << "Input  : " << details.input << "\nOutput : " << details.output << "\nRate : " << details.rateHz
        << " Hz\n";
    for (const std::string& note : details.notes) out << "Note : " << note << '\n';
    if (details.simulated) out << "SIMULATED sound card: these readings measure nothing real.\n";
}

void Header(std::ostream& out) {
    constexpr const char* kOrders[] = {"2nd", "3rd", "4th", "5th", "6th", "7th", "8th", "9th", "Total"};
    out << "     ";
    for (const char* order : kOrders) Cell(out, order);
    out << '\n' << std::string(5 + kColumn * std::size(kOrders), '=') << '\n';
}

}  // namespace

std::string JsonLine(const Meter& meter, const std::optional<StreamDetails>& details) {
    const MeasurementControls& controls = meter.Controls;
    nlohmann::ordered_json line;
    line["block"] = meter.Blocks();
    line["frequency"] = controls.txtFreq.Text();
    line["locked"] = meter.Analysis().FreqLocked;
    line["settled"] = meter.Settled();
    line["peakBin"] = meter.Analysis().PeakBin;
    line["adc"] = controls.LblLevel.Caption();
    line["adcPeak"] = Whole(controls.prgADC.Value());
    line["dac"] = controls.lblDACLevel.Caption();
    line["dacPeak"] = Whole(controls.prgDAC.Value());
    line["thd"] = controls.lblThd.Caption();
    line["percent"] = Captions(controls.lbltest);
    line["db"] = Captions(controls.lblDb);
    if (details) {
        line["input"] = details->input;
        line["output"] = details->output;
        line["rate"] = details->rateHz;
        line["input_bits"] = details->inputBits;
        line["output_bits"] = details->outputBits;
        line["bits"] = std::min(details->inputBits, details->outputBits);
        line["simulated"] = details->simulated;
        line["notes"] = details->notes;
        line["blocksLost"] = details->blocksLost;
        line["framesMissing"] = details->framesMissing;
        line["overruns"] = details->overruns;
        line["underruns"] = details->underruns;
    }
    // Device names can contain any bytes; invalid UTF-8 is replaced.
    return line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

std::string Table(const Meter& meter, const std::optional<StreamDetails>& details) {
    const MeasurementControls& controls = meter.Controls;
    std::ostringstream out;
    out << kProduct << "\nDate : " << FormatDate(Today()) << '\n';
    if (details) DetailLines(out, *details);
    out << "Frequency : " << controls.txtFreq.Text() << " Hz"
        << (meter.Analysis().FreqLocked ? "" : " (not locked)")
        << "\nADC/DAC Level: " << controls.LblLevel.Caption() << "\n\n";
    Header(out);
    out << "Thd %";
    for (const Label& label : controls.lbltest) Cell(out, label.Caption());
    Cell(out, controls.lblThd.Caption());
    out << "\ndB   ";
    for (const Label& label : controls.lblDb) Cell(out, label.Caption());
    out << '\n';
    return out.str();
}

std::string ProgressLine(const Meter& meter) {
    const MeasurementControls& controls = meter.Controls;
    std::ostringstream out;
    out << "block " << meter.Blocks() << "  " << controls.txtFreq.Text() << " Hz "
        << (meter.Analysis().FreqLocked ? "locked" : "not locked") << "  ADC " << controls.LblLevel.Caption()
        << "  averaging " << meter.CyclePosition() << " of " << Meter::kCycleBlocks;
    return out.str();
}

void Print(const std::string& text) {
    std::cout << text << std::flush;
    if (!std::cout) throw MeasureError("The readings cannot be written to the standard output.");
}

}  // namespace sonavex::measure
