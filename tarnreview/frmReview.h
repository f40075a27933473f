// The window: what is looked at, in four pages, and the buttons that open, compare, print and save.
//
// The frame shows at once; the pages, their charts and the file come when it has been painted.
#pragma once

#include <QMainWindow>

#include <filesystem>
#include <functional>

#include "tarnreview/ReviewCase.h"

class QLabel;
class QMenu;
class QPushButton;
class QTabWidget;

namespace tarnreview {

class ChartsPage;
class ComparePage;
class FileWatch;
class FindingsPage;
class Notice;
class ReportPage;

class frmReview : public QMainWindow {
    Q_OBJECT

public:
    // `path`: a data file to look at, or empty.
    explicit frmReview(QString path);
    ~frmReview() override;

    // A refused file is shown in a message box; what was there stays.
    void OpenFile(const QString& path);

protected:
    bool event(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void BuildButtons();
    void BuildNotices();
    void BuildPages();
    void AddKeys();
    // The pages, then the file that was asked for.
    void Furnish();

    void cmdOpen_Click();
    void cmdPrevious_Click();
    void cmdPrint_Click();
    void cmdSave_Click();
    void cmdNewYear_Click();
    void OpenPrevious(const std::filesystem::path& path);
    void ReadAgain();
    void ShowFile();
    void ShowRecent();
    void OfferLastYear();
    void CheckForChange();
    [[nodiscard]] bool HasFile() const { return case_.Season() != nullptr; }
    [[nodiscard]] QString AskForDataFile(const QString& title) const;
    void Help();

    QString wanted_;
    bool isFurnished_ = false;
    ReviewCase case_;
    std::filesystem::path offered_;
    FileWatch* watch_ = nullptr;
    QPushButton* cmdOpen_ = nullptr;
    QPushButton* cmdRecent_ = nullptr;
    QPushButton* cmdPrevious_ = nullptr;
    QPushButton* cmdPrint_ = nullptr;
    QPushButton* cmdSave_ = nullptr;
    QPushButton* cmdNewYear_ = nullptr;
    QMenu* mnuRecent_ = nullptr;
    QWidget* rowButtons_ = nullptr;
    Notice* changed_ = nullptr;
    Notice* lastYear_ = nullptr;
    QTabWidget* tabReview_ = nullptr;
    QLabel* lblWelcome_ = nullptr;
    QLabel* lblFigure_ = nullptr;
    FindingsPage* findings_ = nullptr;
    ChartsPage* charts_ = nullptr;
    ReportPage* report_ = nullptr;
    ComparePage* compare_ = nullptr;
};

}  // namespace tarnreview
