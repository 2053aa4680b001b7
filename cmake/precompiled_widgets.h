// Headers of libraries that most sources with widgets read: see quill_precompiled_headers in
// QuillTargets.cmake.
#pragma once

#include "cmake/precompiled_core.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWidget>
