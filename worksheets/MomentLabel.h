// A short remark beside a text box that shows for a moment, such as what the box does not take. It
// keeps its place while it is hidden.
#pragma once

#include <QLabel>
#include <QTimer>

class QLineEdit;

namespace worksheets {

class MomentLabel : public QLabel {
    Q_OBJECT

public:
    // The remark also describes `box` to a screen reader.
    MomentLabel(const char* name, const QString& remark, QLineEdit& box, QWidget* parent);

    // Shows the remark and has a screen reader say it; the box is marked meanwhile.
    void ShowForAMoment();

private:
    void Mark(bool marked);

    QLineEdit& box_;
    QTimer timer_;
};

}  // namespace worksheets
