#pragma once

#include <QString>
#include <vector>

#include "ui/widgets/ChoiceBox.h"

class QStandardItemModel;

namespace sonavex::ui {

// A drop-down list of record lengths with their duration, bin width and lowest frequency in columns.
class LengthChoice : public ChoiceBox {
    Q_OBJECT

public:
    struct Entry {
        QString name;  // shown while the list is closed
        QString points;
        QString seconds;
        QString binHz;
        QString lowestHz;
        friend bool operator==(const Entry&, const Entry&) = default;
    };

    explicit LengthChoice(QWidget* parent = nullptr);

    void SetEntries(std::vector<Entry> entries);

    void showPopup() override;

private:
    std::vector<Entry> entries_;
    QStandardItemModel* list_;
};

}  // namespace sonavex::ui
