// What most files with windows read. All headers of Qt at once would take longer to load than to
// read.
#pragma once

#include <QAbstractItemModel>
#include <QApplication>
#include <QBoxLayout>
#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QString>
#include <QTableView>
#include <QTimer>
#include <QVariant>
#include <QWidget>

#include "standard.h"
