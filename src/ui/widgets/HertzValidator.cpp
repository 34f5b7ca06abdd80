#include "ui/widgets/HertzValidator.h"

#include <QRegularExpression>
#include <algorithm>

namespace sonavex::ui {

QValidator::State HertzValidator::validate(QString& input, int& position) const {
    static const QRegularExpression number(QStringLiteral(R"(\A[0-9]*\.?[0-9]*\z)"));
    while (!input.isEmpty() && input.back().isSpace()) input.chop(1);
    position = std::min(position, static_cast<int>(input.size()));
    return number.match(input).hasMatch() ? Acceptable : Invalid;
}

}  // namespace sonavex::ui
