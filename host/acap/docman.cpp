// The open documents, their locks and who hears of them.
