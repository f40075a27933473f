// What opening and closing data files asks of the shell.
#pragma once

class QWidget;

namespace datafile {

class DatafileHost {
public:
    virtual ~DatafileHost() = default;

    // Back to the start screen after an open that failed.
    virtual void FCD_Restart() = 0;
    // Lets go of the worksheet of the file that is about to be closed, after saving it.
    virtual void ReleaseWorksheet() = 0;
    // What dialogs are placed over; may be null.
    virtual QWidget* Frame() = 0;
};

}  // namespace datafile
