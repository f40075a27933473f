// Shows the pages of a help file: their text, pictures and styles come out of the help engine.
#pragma once

#include <QTextBrowser>

class QHelpEngineCore;

class HelpBrowser : public QTextBrowser {
    Q_OBJECT

public:
    HelpBrowser(const QHelpEngineCore& engine, QWidget* parent);

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

    const QHelpEngineCore& engine_;
    int textSize_ = 0;
};
