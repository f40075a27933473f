// A line across the window that offers something and can be waved away.
#pragma once

#include <QFrame>

class QLabel;
class QPushButton;

namespace tarnreview {

class Notice : public QFrame {
    Q_OBJECT

public:
    // `name` is that of the panel, its label and its buttons: pnlChanged, lblChanged, cmdChanged,
    // cmdChangedNo.
    Notice(const QString& name, const QString& accept, QWidget* parent);

    void Offer(const QString& words);
    void Withdraw() { hide(); }

signals:
    void Accepted();
    void Declined();

private:
    QLabel* label_;
    QPushButton* accept_;
};

}  // namespace tarnreview
