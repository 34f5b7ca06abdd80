#pragma once

#include <QValidator>

namespace sonavex::ui {

// Allows digits and one decimal point. Removes white space at the end, because copied figures often end with
// a line break.
class HertzValidator : public QValidator {
    Q_OBJECT

public:
    using QValidator::QValidator;

    State validate(QString& input, int& position) const override;
};

}  // namespace sonavex::ui
