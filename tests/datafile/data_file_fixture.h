// A program folder and a data file made from the template, for tests of the data file.
#pragma once

#include <gtest/gtest.h>

#include <QString>

#include "datafile/DatafileHost.h"
#include "datafile/PrepDatafile.h"
#include "datafile/PrepDatatables.h"
#include "support/BuiltProgramFolder.h"

// Counts what opening and closing asks of the shell.
class RecordingHost : public datafile::DatafileHost {
public:
    void FCD_Restart() override { ++restarts; }
    void ReleaseWorksheet() override {
        ++releases;
        wasOpenAtRelease = PrepDatafile::IsDatafileOpen();
    }
    QWidget* Frame() override { return nullptr; }

    int restarts = 0;
    int releases = 0;
    bool wasOpenAtRelease = false;
};

class DataFileTest : public testing::Test {
protected:
    DataFileTest() { PrepDatafile::SetHost(&host_); }
    ~DataFileTest() override {
        if (PrepDatafile::IsDatafileOpen()) {
            PrepDatafile::CloseDatafile();
        }
        PrepDatafile::SetHost(nullptr);
    }

    // A copy of the template under this name in the folder Costs.
    QString NewFile(const QString& name = QStringLiteral("GPFWA26.FCD")) {
        return folder_.NewFile(name);
    }
    void OpenFile(const QString& path) {
        ASSERT_TRUE(PrepDatafile::OpenDatatables(path));
        ASSERT_TRUE(PrepDatatables::OpenRecordsets());
    }
    void OpenNewFile() { OpenFile(NewFile()); }

    support::ProgramFolder folder_;
    RecordingHost host_;
};
