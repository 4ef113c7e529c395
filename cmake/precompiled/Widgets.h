// The same for the modules with widgets.
#include "Core.h"

#include <QAbstractButton>
#include <QAccessibleWidget>
#include <QApplication>
#include <QBoxLayout>
#include <QDialog>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QUrl>
#include <QWidget>
#include <QWindow>
