// The report as it is handed in, to be read on the screen.
#pragma once

#include <QWidget>

#include "review/document.h"

class QComboBox;

namespace tarnreview {

class ReportText;
class ReviewCase;

class ReportPage : public QWidget {
    Q_OBJECT

public:
    ReportPage(const ReviewCase& reviewed, QWidget* parent);
    ~ReportPage() override;

    // After a file has been read; the text is made when the page is looked at.
    void ShowFile();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void Fill();
    void ShowPart(int part);

    const ReviewCase& case_;
    review::Document report_;
    bool isOld_ = true;
    QComboBox* cboPart_;
    ReportText* txtReport_;
};

}  // namespace tarnreview
