SELECT 1 WHERE NOT (a = 1 OR b <> 'x') AND c LIKE '[a-b]!_%' ESCAPE '!' AND d NOT BETWEEN -1 AND 2.50
 AND e IS NOT NULL AND f NOT IN (1, 2) AND NOT EXISTS (SELECT 1) OR ((a + 1) * -b % 2 / 3 - +4) >= (5)
