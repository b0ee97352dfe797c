#pragma once

#include "import/basedataimporter.h"

/// Takes over the objects and PGNs of one line of another project; the index range holds for both. A file that is no
/// project gives nothing.
class NCXPImporter : public BaseDataImporter
{
    Q_OBJECT

public:
    NCXPImporter();
    ~NCXPImporter() override;

    QString lastErrorText() const override { return {}; }

    /// The line of the other project; 0 unless it is set.
    void setSourceLine(quint8 line) { sourceLine_ = line; }

protected:
    void read() override;

private:
    quint8 sourceLine_ = 0;
};
