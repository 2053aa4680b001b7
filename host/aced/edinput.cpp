// Prompts for points, numbers, texts and keywords.
