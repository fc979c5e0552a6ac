SELECT [a]]b] AS "c""d", x = [select], [t 1].* FROM [dbo].[t 1] AS [t 1] -- remark
/* a /* nested */ remark */ WHERE [è] = N'ù' AND città = 'Forlì';;
