// Labeled boxes: side by side where the page is wide enough, else below each other with their
// boxes in line.
#pragma once

#include <QWidget>

#include <vector>

class QGridLayout;

namespace worksheets {

class ChoicesRow : public QWidget {
    Q_OBJECT

public:
    explicit ChoicesRow(QWidget* parent);

    // Adds a label and its box behind those that are there.
    void Add(QWidget& label, QWidget& box);

    // Narrow enough for boxes below each other.
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    struct Choice {
        QWidget* label;
        QWidget* box;
    };
    [[nodiscard]] int WidthSideBySide() const;
    void Arrange();

    QGridLayout* grid_;
    std::vector<Choice> choices_;
    int arranged_ = 0;  // how many of them stand as `sideBySide_` says
    bool sideBySide_ = true;
};

}  // namespace worksheets
