#ifndef ADC_H
#define ADC_H

void adc_start(unsigned samples_per_second);
unsigned adc_read(void);

#endif
