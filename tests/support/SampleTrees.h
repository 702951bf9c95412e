#pragma once

// A dossier with every property of every class set and every list with items,
// for round trips and benchmarks. It is read from data/filled-dossier.xml (its
// doubles carry two decimals, so that the text forms give them back unchanged)
// and sized to the pulse and PRI items a caller asks for.

#include <cstdio>
#include <cstdlib>

#include <EmitterDossierDoc/EmitterDossierDoc.h>

namespace TestSupport {

// Keeps the first `count` items, or adds copies of the file's items in turn,
// numbered on, until there are `count`.
template <class Item>
void sizeItems(QVector<Item>& items, int count)
{
    const QVector<Item> file = items;
    items.resize(qMin(count, file.size()));
    items.reserve(count);
    for (int k = items.size(); k < count; ++k) {
        Item item = file.at(k % file.size());
        item.Setid(quint64(k));
        items.append(item);
    }
}

inline EMITTERDOSSIERDOC::EmitterDossier filledDossier(int pulses = 3, int pris = 3)
{
    using namespace EMITTERDOSSIERDOC;
    static const EmitterDossier file = [] {
        EmitterDossier d;
        if (!d.LoadXml(QStringLiteral(EDD_TEST_DATA_DIR "/filled-dossier.xml"))) {
            std::fprintf(stderr, "cannot read %s/filled-dossier.xml\n", EDD_TEST_DATA_DIR);
            std::abort();
        }
        return d;
    }();
    EmitterDossier d = file;
    ELINTParameter& p = d.GetELINTParameter();
    sizeItems(p.GetSequence().GetPulseList().GetPulseItem(), pulses);
    sizeItems(p.GetPRIBehavior().GetPRIList().GetPRIItem(), pris);
    return d;
}

inline EMITTERDOSSIERDOC::ELINTParameter filledParameters(int pulses = 3, int pris = 3)
{
    return filledDossier(pulses, pris).GetELINTParameter();
}

}  // namespace TestSupport
