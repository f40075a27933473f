// Says at a grid how all of it is copied, which no menu does. It stands in the place of the grid's
// note and shows while there is none.
#pragma once

#include <QLabel>

namespace worksheets {

class NoteLine;

class CopyHint : public QLabel {
    Q_OBJECT

public:
    CopyHint(NoteLine& note, QWidget* parent);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace worksheets
