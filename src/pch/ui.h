// What nearly every file of the windows includes; precompiled once for all of them.
#pragma once

#include "core.h"

#include <QAction>
#include <QApplication>
#include <QBoxLayout>
#include <QLabel>
#include <QMainWindow>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>
#include <QWidget>
