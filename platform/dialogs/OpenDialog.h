// Qt's own file dialog for opening a file, which also takes a typed name whose letters differ in
// case from those of the file: names travel between systems, and people know them by sound. The
// pattern "*.*" means every file, those without a dot included.
#pragma once

#include <QFileDialog>

class QLineEdit;

namespace platform {

class OpenDialog : public QFileDialog {
    Q_OBJECT

public:
    OpenDialog(QWidget* parent, const QString& title);

    void accept() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    // The path that the typed name means, empty when there is no such file.
    [[nodiscard]] QString MeantPath() const;
    void EnableOpen();
    void MakeRoomForNames();
    void ListEveryFileWhereAsked();

    QLineEdit* txtName_;
};

}  // namespace platform
