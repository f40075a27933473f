// Uses the program from the inside as a person does from the outside, with real mouse and key
// events that go in at its window, and measures how long each takes until the program has painted
// what came of it and has nothing more to do.
#pragma once

#include <QObject>
#include <QString>
#include <QTextStream>
#include <functional>

class QWidget;

namespace probe {

class Probe : public QObject {
public:
    // Runs the scenario of this name ("switch" or "type") once the program is up, writes a line
    // "step milliseconds" for each measured step, and closes the program.
    Probe(QString scenario, const QString& resultFile);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Run();
    void Switch();
    void Type();
    void TypeInto(const QString& grid, const QString& step);
    void OpenTab(int tab);
    // From now until everything that `act` led to has been painted and handed to the display.
    double MillisecondsFor(const std::function<void()>& act);
    void Measure(const QString& step, const std::function<void()>& act);
    [[nodiscard]] QWidget* Find(const QString& name) const;

    QString scenario_;
    QString results_;
    QString resultFile_;
    QWidget* frame_ = nullptr;
    bool painted_ = false;
};

}  // namespace probe
