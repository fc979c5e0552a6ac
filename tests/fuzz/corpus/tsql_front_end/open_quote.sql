SELECT 'open
