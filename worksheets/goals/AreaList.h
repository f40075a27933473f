// The list box of the management areas: rows as high as those of a grid, "(no name)" in place of an
// empty heading (on the screen and for screen readers; the entry's text stays empty), and a signal
// for a click on the entry that is selected already.
#pragma once

#include <QListWidget>

#include <cstdint>

namespace worksheets {

class AreaList : public QListWidget {
    Q_OBJECT

public:
    explicit AreaList(QWidget* parent);

    void Append(const QString& heading, std::int32_t key);
    // Nothing is signalled.
    void SelectSilently(int row);

signals:
    void ClickedAgain();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    int pressed_ = -1;  // the selected row on which the mouse button went down
};

}  // namespace worksheets
