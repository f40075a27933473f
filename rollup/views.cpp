#include "rollup/views.h"

#include <array>

namespace rollup {

namespace {

// A value a row, live locations only.
constexpr std::string_view kValues = R"(
SELECT f.file_id, f.unit, f.state, f.year, n.zone, z.name AS zone_name, n.location, n.resource,
       r.name AS resource_name, level.fil,
       CASE level.fil WHEN 1 THEN n.fil1 WHEN 2 THEN n.fil2 WHEN 3 THEN n.fil3
                      WHEN 4 THEN n.fil4 WHEN 5 THEN n.fil5 ELSE n.fil6 END AS value
FROM files f
JOIN nvc n ON n.file_id = f.file_id
JOIN zones z ON z.file_id = n.file_id AND z.zone = n.zone
LEFT JOIN nvc_resources r ON r.file_id = n.file_id AND r.resource = n.resource
CROSS JOIN (SELECT 1 AS fil UNION ALL SELECT 2 UNION ALL SELECT 3 UNION ALL SELECT 4
            UNION ALL SELECT 5 UNION ALL SELECT 6) level
WHERE f.status = 'read' AND n.live)";

constexpr std::string_view kTotals = R"(
SELECT file_id, unit, state, year, zone, zone_name, location, fil,
       COALESCE(SUM(value), 0) AS total
FROM nvc_values
GROUP BY file_id, unit, state, year, zone, zone_name, location, fil)";

// A fire belongs to the first class whose bound it does not exceed. One that exceeds all bounds
// belongs to the last class with a cost that has a bound or follows one that has.
constexpr std::string_view kCostClasses = R"(
WITH bounds AS (
    SELECT file_id, zone, class, COALESCE(cost, 0) AS cost,
           CASE WHEN top_size > 0 THEN top_size ELSE 0 END AS bound
    FROM costs WHERE class BETWEEN 1 AND 9),
neighbors AS (
    SELECT file_id, zone, class, cost, bound,
           MAX(bound) OVER (PARTITION BY file_id, zone ORDER BY class
                            ROWS BETWEEN UNBOUNDED PRECEDING AND 1 PRECEDING) AS before,
           MAX(bound) OVER (PARTITION BY file_id, zone) AS largest,
           CASE WHEN LAG(class) OVER (PARTITION BY file_id, zone ORDER BY class) = class - 1
                THEN LAG(bound) OVER (PARTITION BY file_id, zone ORDER BY class) ELSE 0
           END AS previous
    FROM bounds),
ends AS (
    SELECT file_id, zone, class, cost, bound, before, largest,
           MAX(CASE WHEN cost > 0 AND (bound > 0 OR class = 1 OR previous > 0) THEN class END)
               OVER (PARTITION BY file_id, zone) AS open_class
    FROM neighbors),
classes AS (
    SELECT file_id, zone, class, COALESCE(before, 0) AS above, bound AS up_to, cost
    FROM ends WHERE bound > COALESCE(before, 0)
    UNION ALL
    SELECT file_id, zone, class, largest AS above, NULL AS up_to, cost
    FROM ends WHERE class = open_class)
SELECT f.file_id, f.unit, f.state, f.year, c.zone, z.name AS zone_name, c.class, c.above, c.up_to,
       c.cost
FROM files f
JOIN classes c ON c.file_id = f.file_id
JOIN zones z ON z.file_id = c.file_id AND z.zone = c.zone
WHERE f.status = 'read')";

// Zones of several years are one where their names are, without regard to case and blanks at the
// ends; zones of one name in one file are paired in their order.
constexpr std::string_view kChanges = R"(
WITH named AS (
    SELECT file_id, zone, LOWER(TRIM(name)) AS zone_key,
           ROW_NUMBER() OVER (PARTITION BY file_id, LOWER(TRIM(name)) ORDER BY zone) AS place
    FROM zones),
years AS (
    SELECT v.unit, v.state, v.year, v.zone_name, v.location, v.resource, v.resource_name, v.fil,
           COALESCE(v.value, 0) AS value,
           LAG(v.year) OVER same AS previous_year,
           LAG(COALESCE(v.value, 0)) OVER same AS previous_value
    FROM nvc_values v
    JOIN named n ON n.file_id = v.file_id AND n.zone = v.zone
    WHERE v.unit IS NOT NULL AND v.year IS NOT NULL
    WINDOW same AS (PARTITION BY v.unit, v.state, n.zone_key, n.place, v.location, v.resource,
                                 v.fil ORDER BY v.year))
SELECT unit, state, zone_name, location, resource, resource_name, fil, previous_year, year,
       previous_value, value, value - previous_value AS change
FROM years WHERE previous_year < year)";

// The distance from the median of the logarithms of all amounts of one sign, resource and FIL, in
// deviations that are comparable to a standard deviation.
constexpr std::string_view kDistances = R"(
WITH amounts AS (
    SELECT file_id, unit, state, year, zone, zone_name, location, resource, resource_name, fil,
           value, value < 0 AS loss, LOG10(ABS(value)) AS x,
           COUNT(*) OVER (PARTITION BY resource, fil, value < 0, file_id) AS own
    FROM nvc_values WHERE value <> 0),
ranked AS (
    SELECT resource, fil, loss, x,
           ROW_NUMBER() OVER (PARTITION BY resource, fil, loss ORDER BY x) AS place,
           COUNT(*) OVER (PARTITION BY resource, fil, loss) AS n
    FROM amounts),
middles AS (
    SELECT resource, fil, loss, n, AVG(x) AS median
    FROM ranked WHERE 2 * place BETWEEN n AND n + 2
    GROUP BY resource, fil, loss, n),
distances AS (
    SELECT r.resource, r.fil, r.loss, ABS(r.x - m.median) AS d,
           ROW_NUMBER() OVER (PARTITION BY r.resource, r.fil, r.loss
                              ORDER BY ABS(r.x - m.median)) AS place, m.n
    FROM ranked r
    JOIN middles m ON m.resource = r.resource AND m.fil = r.fil AND m.loss = r.loss),
spreads AS (
    SELECT resource, fil, loss, 1.4826 * AVG(d) AS deviation
    FROM distances WHERE 2 * place BETWEEN n AND n + 2
    GROUP BY resource, fil, loss)
SELECT a.file_id, a.unit, a.state, a.year, a.zone, a.zone_name, a.location, a.resource,
       a.resource_name, a.fil, a.value, m.n - a.own AS others,
       ABS(a.x - m.median) / s.deviation AS distance
FROM amounts a
JOIN middles m ON m.resource = a.resource AND m.fil = a.fil AND m.loss = a.loss
JOIN spreads s ON s.resource = a.resource AND s.fil = a.fil AND s.loss = a.loss
WHERE s.deviation > 0)";

constexpr std::string_view kOutliers = R"(
SELECT * FROM nvc_distances WHERE others >= 20 AND distance > 5)";

constexpr std::array kViews{View{"nvc_values", kValues},        View{"nvc_totals", kTotals},
                            View{"cost_classes", kCostClasses}, View{"nvc_changes", kChanges},
                            View{"nvc_distances", kDistances},  View{"nvc_outliers", kOutliers}};

}  // namespace

std::span<const View> Views() {
    return kViews;
}

std::vector<std::string> ViewStatements(Dialect dialect) {
    const std::string create = dialect == Dialect::kSqlite   ? "CREATE VIEW IF NOT EXISTS "
                               : dialect == Dialect::kDuckDb ? "CREATE OR REPLACE VIEW "
                                                             : "CREATE VIEW ";
    std::vector<std::string> statements;
    for (const View& view : kViews) {
        statements.push_back(create + std::string(view.name) + " AS" + std::string(view.query));
    }
    return statements;
}

}  // namespace rollup
