// The names of the data file's fields, and of the index that all of its tables have. A table of an
// assessment file has some of them too.
#pragma once

#include <QString>

namespace FieldNames {

inline const QString kPrimaryKey = QStringLiteral("PrimaryKey");

// Properties
inline const QString kProperty = QStringLiteral("Property");
inline const QString kValue = QStringLiteral("Value");

// ManagementGoals, FMZList and SRMasterList are numbered by Key.
inline const QString kKey = QStringLiteral("Key");
inline const QString kManagementArea = QStringLiteral("ManagementArea");
inline const QString kExplanation = QStringLiteral("Explanation");
inline const QString kName = QStringLiteral("Name");
inline const QString kRLCount = QStringLiteral("RLCount");
inline const QString kSequence = QStringLiteral("Sequence");
inline const QString kLongName = QStringLiteral("LongName");
inline const QString kShortName = QStringLiteral("ShortName");
inline const QString kUnits = QStringLiteral("Units");
inline const QString kUnitType = QStringLiteral("UnitType");
inline const QString kCost = QStringLiteral("Cost");

// SuppressionPerAcreCost, with Sequence and Cost
inline const QString kFMZKey = QStringLiteral("FMZKey");
inline const QString kTopSize = QStringLiteral("TopSize");

// NVCPerAcre and NVCResources
inline const QString kFMZRLKey = QStringLiteral("FMZRLKey");
inline const QString kResourceNumber = QStringLiteral("ResourceNumber");
inline const QString kResourceName = QStringLiteral("ResourceName");

}  // namespace FieldNames
