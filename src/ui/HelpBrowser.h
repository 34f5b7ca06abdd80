#pragma once

#include <QImage>
#include <QTextBrowser>

#include "core/ports/HelpBook.h"

namespace sonavex::ui {

// Shows pages and pictures of a help book and nothing else: what an address outside the book names is
// neither shown nor loaded.
class HelpBrowser : public QTextBrowser {
    Q_OBJECT

public:
    explicit HelpBrowser(QWidget* parent = nullptr);

    // The book must outlive its use here; nothing is shown before.
    void SetBook(const HelpBook& book) { book_ = &book; }
    void ShowPage(const QString& page);
    // Path of the page that is shown, empty before the first one.
    QString Page() const;

    QVariant loadResource(int type, const QUrl& name) override;

protected:
    void doSetSource(const QUrl& name, QTextDocument::ResourceType type) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    // A picture no wider than the page; an empty one of a single dot for what is no picture.
    QImage FittedPicture(const QByteArray& content) const;

    void Refit();

    const HelpBook* book_ = nullptr;
    bool refitting_ = false;
};

}  // namespace sonavex::ui
