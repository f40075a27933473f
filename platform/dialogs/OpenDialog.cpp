#include "platform/dialogs/OpenDialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QTreeView>
#include <algorithm>

#include "platform/system/Files.h"

namespace platform {

namespace {

constexpr int kWidth = 100;  // average characters
constexpr int kNameColumn = 0;
constexpr int kLeastOfName = 20;             // average characters
constexpr int kColumnsToLose[] = {2, 3, 1};  // kinds, dates, sizes

}  // namespace

OpenDialog::OpenDialog(QWidget* parent, const QString& title) : QFileDialog(parent, title) {
    setOption(DontUseNativeDialog);
    setAcceptMode(AcceptOpen);
    txtName_ = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    if (txtName_ != nullptr) {
        // After the dialog's own handler, which knows exact names only.
        connect(txtName_, &QLineEdit::textChanged, this, &OpenDialog::EnableOpen);
    }
    if (auto* kinds = findChild<QComboBox*>(QStringLiteral("fileTypeCombo"))) {
        // After the dialog's own handler, which takes the pattern by the letter.
        connect(kinds, &QComboBox::currentIndexChanged, this, &OpenDialog::ListEveryFileWhereAsked,
                Qt::QueuedConnection);
    }
    const int room = screen()->availableGeometry().width();
    resize(std::min(fontMetrics().averageCharWidth() * kWidth, room), height());
}

void OpenDialog::accept() {
    const QString path = MeantPath();
    if (!path.isEmpty() && txtName_ != nullptr) {
        txtName_->setText(path);
    }
    QFileDialog::accept();
}

// The names get the room that sizes, kinds and dates leave.
void OpenDialog::showEvent(QShowEvent* event) {
    QFileDialog::showEvent(event);
    ListEveryFileWhereAsked();
    if (auto* list = findChild<QTreeView*>(QStringLiteral("treeView"))) {
        list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
        list->header()->setSectionResizeMode(kNameColumn, QHeaderView::Stretch);
        list->header()->setStretchLastSection(false);
        // The others take what they need when the folder has been read.
        connect(list->header(), &QHeaderView::sectionResized, this, &OpenDialog::MakeRoomForNames,
                Qt::QueuedConnection);
    }
}

// In a large font on a small screen the names would have none left.
void OpenDialog::MakeRoomForNames() {
    auto* list = findChild<QTreeView*>(QStringLiteral("treeView"));
    const int least = fontMetrics().averageCharWidth() * kLeastOfName;
    if (list->header()->sectionSize(kNameColumn) >= least) {
        return;
    }
    // One at a time: the names get its room when this is over, and this is called again.
    const auto* column = std::find_if_not(std::begin(kColumnsToLose), std::end(kColumnsToLose),
                                          [list](int at) { return list->isColumnHidden(at); });
    if (column != std::end(kColumnsToLose)) {
        list->setColumnHidden(*column, true);
    }
}

void OpenDialog::ListEveryFileWhereAsked() {
    auto* files = findChild<QFileSystemModel*>();
    if (files != nullptr && files->nameFilters().contains(QStringLiteral("*.*"))) {
        files->setNameFilters({QStringLiteral("*")});
    }
}

QString OpenDialog::MeantPath() const {
    const QString typed = txtName_ == nullptr ? QString() : txtName_->text().trimmed();
    if (typed.isEmpty() || fileMode() != ExistingFile) {
        return {};
    }
    const QString path = directory().absoluteFilePath(typed);
    const QString meant = platform::FindPath(path);
    return meant != path && QFileInfo(meant).isFile() ? meant : QString();
}

void OpenDialog::EnableOpen() {
    auto* buttons = findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
    QPushButton* open = buttons == nullptr ? nullptr : buttons->button(QDialogButtonBox::Open);
    if (open != nullptr && !open->isEnabled() && !MeantPath().isEmpty()) {
        open->setEnabled(true);
    }
}

}  // namespace platform
