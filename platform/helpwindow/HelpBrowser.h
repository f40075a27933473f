// Shows the pages of a help file: their text, pictures and styles come out of it.
#pragma once

#include <QTextBrowser>

namespace platform {

class HelpFile;

class HelpBrowser : public QTextBrowser {
    Q_OBJECT

public:
    HelpBrowser(const HelpFile& file, QWidget* parent);

    // `page` is its name in the file, such as "pages/zones.html".
    void ShowPage(const QString& page);
    [[nodiscard]] static QString PageAt(const QUrl& address) { return address.path().mid(1); }

    QVariant loadResource(int type, const QUrl& name) override;
    void SetTextSize(int step);  // 0 is the application's own size
    [[nodiscard]] int TextSize() const { return textSize_; }

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void doSetSource(const QUrl& name, QTextDocument::ResourceType type) override;

private:
    void MakeLinksReadable();
    void FitPictures();
    void SetScaled(const QUrl& name, double width);

    const HelpFile& file_;
    int textSize_ = 0;
};

}  // namespace platform
