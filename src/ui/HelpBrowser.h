#pragma once

#include <QImage>
#include <QTextBrowser>

#include "core/ports/HelpBook.h"

namespace sonavex::ui {

// Shows pages and pictures of a help book only. Addresses outside the book are neither shown nor loaded.
class HelpBrowser : public QTextBrowser {
    Q_OBJECT

public:
    explicit HelpBrowser(QWidget* parent = nullptr);

    // Nothing is shown before this call. The book must exist until the next call, or as long as this object.
    void SetBook(const HelpBook& book) { book_ = &book; }
    void ShowPage(const QString& page);
    // Path of the present page; empty before the first one.
    QString Page() const;

    QVariant loadResource(int type, const QUrl& name) override;

protected:
    void doSetSource(const QUrl& name, QTextDocument::ResourceType type) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    // The picture, at most as wide as the page; a transparent dot if the content is not a picture.
    QImage FittedPicture(const QByteArray& content) const;

    void Refit();

    const HelpBook* book_ = nullptr;
    bool refitting_ = false;
};

}  // namespace sonavex::ui
