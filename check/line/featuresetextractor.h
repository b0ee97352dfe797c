#pragma once

#include <QObject>

/// Place of a reader for the list of features in a stack's feature file. This program compares the stack's version only
/// (`VersionReader`) and leaves the list unread, so there is nothing in here.
class FeatureSetExtractor : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
};
