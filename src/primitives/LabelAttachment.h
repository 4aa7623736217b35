#pragma once

#include <KelvOsgTools/CTableMeta.h>

#include "foundation/AppendChild.h"

#include <osg/Group>
#include <osg/ref_ptr>

namespace KelvOsgTools::detail {

/// Makes a group the label of a feature and a child of it, if it is a CTableMeta; otherwise the
/// feature has no label any more. A former label stays a child.
/// @return false, with nothing changed, if table is null
inline bool attachLabel(osg::Group& feature, osg::ref_ptr<CTableMeta>& label, const osg::ref_ptr<osg::Group>& table)
{
    if (!table) return false;
    auto* const attached = dynamic_cast<CTableMeta*>(table.get());
    if (attached) appendChild(feature, attached);
    label = attached;
    return true;
}

} // namespace KelvOsgTools::detail
