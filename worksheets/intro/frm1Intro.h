// Worksheet 1: what the six worksheets are for. It reads and writes nothing.
#pragma once

#include "worksheets/WorksheetPage.h"

class FLabel;

class frm1Intro : public worksheets::WorksheetPage {
    Q_OBJECT

public:
    static constexpr const char* kID = "INT";  // of the worksheet

    frm1Intro(worksheets::WorksheetHost& host, QWidget* parent);

    void SetUp() override { Setup(); }
    void Unload() override;

    void Setup();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    FLabel* flbDescription_;
};
