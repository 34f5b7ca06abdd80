// Binds the widgets of the Analyzer to control values.

#include <QProgressBar>
#include <QSignalBlocker>
#include <algorithm>

#include "core/precise/display/AnalysisPanel.h"
#include "core/precise/display/AnalyzerControls.h"
#include "ui/Binder.h"
#include "ui/widgets/ChipView.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/HarmonicsView.h"
#include "ui/widgets/LengthChoice.h"
#include "ui/widgets/ProgressValue.h"
#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr int kProgressSteps = 1000;

QString TextOf(const std::string& text) {
    return QString::fromStdString(text);
}

ChipView::Kind KindOf(StateChip::Kind kind) {
    switch (kind) {
        case StateChip::Kind::kValid:
            return ChipView::Kind::kValid;
        case StateChip::Kind::kSettling:
            return ChipView::Kind::kSettling;
        case StateChip::Kind::kUnsteady:
            return ChipView::Kind::kUnsteady;
        case StateChip::Kind::kVoid:
            return ChipView::Kind::kVoid;
        case StateChip::Kind::kOverload:
            return ChipView::Kind::kOverload;
        case StateChip::Kind::kOff:
            break;
    }
    return ChipView::Kind::kOff;
}

}  // namespace

void Binder::Bind(QLabel& widget, ReadingLabel& control) {
    Add(widget, control, [&widget, &control] {
        ShowLabel(widget, control);
        SetQuietInk(widget, control.Quiet());
    });
}

void Binder::Bind(ElidedLabel& widget, NoteLabel& control) {
    Add(widget, control, [&widget, &control] {
        ShowLabel(widget, control);
        widget.setProperty("role", control.Emphasis() ? "note" : "quietNote");
        Repolish(widget);
    });
}

void Binder::Bind(ChipView& widget, StateChip& control) {
    Add(widget, control, [&widget, &control] {
        widget.Show(KindOf(control.State()), TextOf(control.Text()), control.Progress());
    });
}

void Binder::Bind(HarmonicsView& widget, HarmonicsTable& control) {
    Add(widget, control, [&widget, &control] {
        std::vector<HarmonicsView::Row> rows;
        for (const HarmonicsTable::Row& row : control.Rows())
            rows.push_back({TextOf(row.order), TextOf(row.level), TextOf(row.spread), TextOf(row.phase),
                            row.bar, row.bound, TextOf(row.phase), control.Quiet()});
        widget.SetRows(std::move(rows));
    });
}

void Binder::Bind(QProgressBar& widget, ProgressBar& control) {
    Add(widget, control, [&widget, &control] {
        widget.setMaximum(kProgressSteps);
        ShowProgress(widget,
                     static_cast<int>(control.Value() / std::max(control.Max(), 1e-6F) * kProgressSteps));
    });
}

void Binder::Bind(LengthChoice& widget, ComboBox& control, const std::vector<LengthEntry>& entries) {
    Add(widget, control, [&widget, &control, &entries] {
        std::vector<LengthChoice::Entry> shown;
        for (std::size_t i = 0; i < entries.size(); ++i)
            shown.push_back({TextOf(control.Items()[i]), TextOf(entries[i].points),
                             TextOf(entries[i].seconds), TextOf(entries[i].binHz),
                             TextOf(entries[i].lowestHz)});
        widget.SetEntries(std::move(shown));
        widget.setCurrentIndex(control.ListIndex());
        widget.setEnabled(control.Enabled());
    });
    connect(&widget, &QComboBox::activated, this,
            [this, &control](int index) { Handle([&] { control.UserSelects(index); }); });
}

}  // namespace sonavex::ui
